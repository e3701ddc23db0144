// Stands beside a test as a graphics hook module that exports nothing.
