# Flags for the project's own code stand on one interface target, so that
# third-party code built along with it (GoogleTest) keeps its own.
add_library(zolex_options INTERFACE)
target_compile_options(zolex_options INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror
  # g++ 12 sees overlapping copies in plain additions of strings.
  $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>)
# printf formats must mean the same on every system.
target_compile_definitions(zolex_options INTERFACE $<$<PLATFORM_ID:Windows>:__USE_MINGW_ANSI_STDIO=1>)

# The sanitizers watch the project's own code; the code of the tests is only linked with them, which
# halves the time that it takes to compile.
add_library(zolex_sanitized INTERFACE)
if(ZOLEX_SANITIZE)
  target_compile_options(zolex_sanitized INTERFACE
    -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=address,undefined)
endif()

if(WIN32)
  # One static executable that needs no DLL beside the system's own.
  add_link_options(-static)
endif()
