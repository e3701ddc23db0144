# In the helpers' directory, where nothing looks for it: a test puts it in the system's keyboard's place for a while.
zemo_test_helper(stand_in_keyboard WIN32 stand_in_keyboard.cpp)
target_link_libraries(stand_in_keyboard PRIVATE advapi32)
