# A process that only waits, for tests of what one process does to another.
zemo_test_helper(sleeping_process sleeping_process.cpp)

zemo_test_helper(suspended_child suspended_child.cpp)
target_link_libraries(suspended_child PRIVATE zemo_objects)

zemo_test_helper(long_writes long_writes.cpp)
target_link_libraries(long_writes PRIVATE zemo_objects)
