# A plain release build is optimized as those of the presets are; with more the compiler sees faults of
# texts that are none.
string(REPLACE "-O3" "-O2" CMAKE_CXX_FLAGS_RELEASE "${CMAKE_CXX_FLAGS_RELEASE}")

# Flags for the project's own code stand on one interface target, so that
# third-party code built along with it (GoogleTest) keeps its own.
add_library(zolex_options INTERFACE)
target_compile_options(zolex_options INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion -Werror
  # A variable of a function hides nothing when its name is one of another source's; see zolex_unity.
  $<IF:$<BOOL:$<TARGET_PROPERTY:UNITY_BUILD>>,$<IF:$<CXX_COMPILER_ID:GNU>,-Wshadow=local,-Wno-shadow>,-Wshadow>
  # g++ 12 sees overlapping copies in plain additions of strings.
  $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>)
# printf formats must mean the same on every system.
target_compile_definitions(zolex_options INTERFACE $<$<PLATFORM_ID:Windows>:__USE_MINGW_ANSI_STDIO=1>)

# No path of the machine that builds stands in what is shipped.
target_compile_options(zolex_options INTERFACE
  $<$<CONFIG:Release>:-ffile-prefix-map=${PROJECT_BINARY_DIR}=build>
  $<$<CONFIG:Release>:-ffile-prefix-map=${PROJECT_SOURCE_DIR}=.>)

# The sanitizers watch the project's own code; the code of the tests is only linked with them, which
# halves the time that it takes to compile.
add_library(zolex_sanitized INTERFACE)
if(ZOLEX_SANITIZE)
  target_compile_options(zolex_sanitized INTERFACE
    -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=address,undefined)
endif()

# What is shipped for Linux: checks of buffers and of the stack, and nothing that can be written once
# the program has started where the loader has put addresses. The tests, which are not optimized, have
# none of it. tests/release/check-hardening looks at the programs.
#
# The programs themselves are static, at an address of the kernel's choice, and stripped: half of the
# time that a short run takes went into the loading of libraries. Test programs are linked as usual.
add_library(zolex_hardened INTERFACE)
add_library(zolex_shipped INTERFACE)
target_link_libraries(zolex_shipped INTERFACE zolex_sanitized zolex_hardened)
if(NOT WIN32 AND NOT ZOLEX_SANITIZE)
  target_compile_options(zolex_hardened INTERFACE
    $<$<CONFIG:Release>:-fPIE -fstack-protector-strong -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=3>)
  target_link_options(zolex_hardened INTERFACE
    $<$<CONFIG:Release>:-Wl,-z,relro -Wl,-z,now -Wl,-z,noexecstack>)
  target_link_options(zolex_shipped INTERFACE $<$<CONFIG:Release>:-static-pie -s>)
endif()

if(WIN32)
  # One static executable that needs no DLL beside the system's own, the same bytes from every build.
  # The linker's target is NT 5.2, the oldest 64-bit Windows.
  target_compile_options(zolex_options INTERFACE -ffunction-sections -fdata-sections)
  # The compiler names the libraries that are needed, in the order that takes the least from KERNEL32.
  set(CMAKE_CXX_STANDARD_LIBRARIES "")
  add_link_options(-static -Wl,--no-insert-timestamp
    -Wl,--major-os-version,5 -Wl,--minor-os-version,2
    -Wl,--major-subsystem-version,5 -Wl,--minor-subsystem-version,2)
endif()

# A third of the time that a source takes to compile goes into headers of the standard library. Builds
# with sanitizers do without, so that each source shows that it names what it needs.
function(zolex_precompile target)
  if(CMAKE_BUILD_TYPE STREQUAL Release AND NOT ZOLEX_SANITIZE)
    target_precompile_headers(${target} PRIVATE <algorithm> <array> <charconv> <cstdint> <functional>
      <iterator> <map> <memory> <optional> <set> <span> <stdexcept> <string> <string_view> <tuple>
      <utility> <vector>)
    # g++ 12 then takes its own additions of strings for copies beyond a text.
    target_compile_options(${target} PRIVATE
      $<$<CXX_COMPILER_ID:GNU>:-Wno-array-bounds -Wno-stringop-overflow -Wno-stringop-overread>)
  endif()
endfunction()

# Most of the time that a test takes to compile goes into headers and templates that its neighbours
# have too: the sources of a folder are compiled as one, or as some of `size` sources each where one
# would take too long. A name of an anonymous namespace is therefore taken once in a folder. Builds with
# sanitizers compile each source alone, so that each shows that it names what it needs; so does
# ZOLEX_UNITY=OFF, for whoever works on one source.
function(zolex_unity target)
  if(ZOLEX_UNITY AND CMAKE_BUILD_TYPE STREQUAL Release AND NOT ZOLEX_SANITIZE)
    set(size ${ARGN})
    if(NOT size)
      set(size 0)
    endif()
    set_target_properties(${target} PROPERTIES UNITY_BUILD ON UNITY_BUILD_BATCH_SIZE ${size})
    # An object of Windows has no more than 32767 sections otherwise, three for each inline function.
    target_compile_options(${target} PRIVATE $<$<PLATFORM_ID:Windows>:-Wa,-mbig-obj>)
  endif()
endfunction()

# zolex_unity_folders(TARGET BASE SOURCES...): the same of a library of many folders, for the sources
# given: those of a folder of BASE are compiled as one.
function(zolex_unity_folders target base)
  if(ZOLEX_UNITY AND CMAKE_BUILD_TYPE STREQUAL Release AND NOT ZOLEX_SANITIZE)
    set_target_properties(${target} PROPERTIES UNITY_BUILD ON UNITY_BUILD_MODE GROUP)
    foreach(source ${ARGN})
      cmake_path(RELATIVE_PATH source BASE_DIRECTORY ${base} OUTPUT_VARIABLE folder)
      string(REGEX REPLACE "/.*" "" folder ${folder})
      set_source_files_properties(${source} PROPERTIES UNITY_GROUP ${folder})
    endforeach()
  endif()
endfunction()
