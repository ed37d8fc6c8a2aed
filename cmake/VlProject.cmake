# What every folder's CMakeLists.txt builds with: compiler settings, floors, tests.
include_guard(GLOBAL)

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

find_program(VL_CCACHE ccache)
if(VL_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  set(CMAKE_CXX_COMPILER_LAUNCHER ${VL_CCACHE})
endif()

add_library(vl_warnings INTERFACE)
if(MSVC)
  target_compile_options(vl_warnings INTERFACE /W4 /WX /permissive- /utf-8)
  target_compile_definitions(vl_warnings INTERFACE NOMINMAX _CRT_SECURE_NO_WARNINGS)
else()
  target_compile_options(
    vl_warnings
    INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion
              -Wnon-virtual-dtor -Woverloaded-virtual -Werror
              # The trace names places; the build machine's folders are nobody's business.
              -fmacro-prefix-map=${PROJECT_SOURCE_DIR}/=)
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
    # When it optimises, GCC 12 sees overlapping copies where std::string is assigned a literal
    # (GCC bug 105651), sizes and offsets out of bounds where a std::vector of bytes grows, moves or
    # is compared (105329, 107852), and pointers kept where numbers are copied out of a std::array.
    # Later compilers and the sanitizers keep the watch.
    target_compile_options(
      vl_warnings INTERFACE -Wno-restrict -Wno-array-bounds -Wno-stringop-overflow
                            -Wno-stringop-overread -Wno-dangling-pointer)
  endif()
endif()
if(VL_SANITIZE)
  add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=all
                      -fno-omit-frame-pointer)
  add_link_options(-fsanitize=address,undefined)
endif()
if(VL_FUZZ)
  add_compile_options(-fsanitize=fuzzer-no-link,address,undefined -fno-sanitize-recover=all
                      -fno-omit-frame-pointer)
  add_link_options(-fsanitize=address,undefined)
endif()

# One static library per floor. HEADERS become visible, under their path from the root, only to
# those who link the library: each gets a one-line forwarding header in a folder of the library's
# own, so an include that goes up does not build. USES are the floors and libraries below that the
# headers speak of; PRIVATE_USES those that only the sources need.
function(vl_library name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "HEADERS;SOURCES;USES;PRIVATE_USES")
  add_library(${name} STATIC ${arg_SOURCES})
  foreach(header IN LISTS arg_HEADERS)
    set(forwarder ${PROJECT_BINARY_DIR}/floors/${name}/${header})
    cmake_path(GET forwarder PARENT_PATH folder)
    # A relative path, so that the compiler cache knows the same source in another checkout.
    file(RELATIVE_PATH target ${folder} ${PROJECT_SOURCE_DIR}/${header})
    file(CONFIGURE OUTPUT ${forwarder} CONTENT "#include \"${target}\"\n" @ONLY)
  endforeach()
  target_include_directories(${name} PUBLIC ${PROJECT_BINARY_DIR}/floors/${name})
  target_link_libraries(${name} PUBLIC ${arg_USES} PRIVATE ${arg_PRIVATE_USES} vl_warnings)
endfunction()

# One test program per folder; every case of it is a test of its own.
function(vl_test name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "SOURCES;USES")
  add_executable(${name} ${arg_SOURCES})
  target_link_libraries(${name} PRIVATE ${arg_USES} vl_test_support GTest::gmock_main
                                        vl_warnings)
  gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST PROPERTIES TIMEOUT 300)
endfunction()
