# Debian packages GoogleTest's sources but no Windows build of it.
add_library(quillmarch_gtest STATIC
  /usr/src/googletest/googletest/src/gtest-all.cc
  /usr/src/googletest/googlemock/src/gmock-all.cc
  /usr/src/googletest/googletest/src/gtest_main.cc)
target_include_directories(quillmarch_gtest SYSTEM PUBLIC
  /usr/src/googletest/googletest/include /usr/src/googletest/googlemock/include)
target_include_directories(quillmarch_gtest PRIVATE
  /usr/src/googletest/googletest /usr/src/googletest/googlemock)
add_library(GTest::gtest_main ALIAS quillmarch_gtest)
add_library(GTest::gmock ALIAS quillmarch_gtest)
