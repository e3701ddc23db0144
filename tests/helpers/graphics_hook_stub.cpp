// Stands beside a test as the graphics hook module. It has nothing in it: the library only loads it and keeps its
// handle.
