# A process that only waits, for tests of what one process does to another.
zemo_test_helper(sleeping_process sleeping_process.cpp)
