# Counts what runs of src/. The tests are counted too: a function of a header is linked once, and the
# copy that is kept can be theirs.
function(zolex_count_coverage)
  foreach(target zolex_core zolex zolex_test_support zolex-tests zolex-unpaused)
    target_compile_options(${target} PRIVATE --coverage)
  endforeach()
  target_link_options(zolex_core INTERFACE --coverage)
endfunction()
cmake_language(DEFER CALL zolex_count_coverage)
