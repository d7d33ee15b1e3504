# Build switches and the warnings that every target obeys.
option(TARN_TESTS "build the tests" ON)
option(TARN_SANITIZE "build with AddressSanitizer and UndefinedBehaviorSanitizer" OFF)
option(TARN_FUZZ "build the libFuzzer targets (needs clang)" OFF)

# Warnings are errors with g++, the compiler of releases; clang, which builds the fuzz targets, only shows its own.
# -Wno-restrict: g++ 12 takes std::string sums for overlapping copies (its bug 105651).
add_compile_options(-Wall -Wextra -Wpedantic -Wshadow $<$<CXX_COMPILER_ID:GNU>:-Werror>
  $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>)
# Results must not depend on the compiler's taste: no fused or reordered arithmetic.
add_compile_options(-ffp-contract=off -fno-math-errno)
if(TARN_SANITIZE)
  # The instrumented library headers give false warnings of uninitialised members.
  add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer -g
    $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
  add_link_options(-fsanitize=address,undefined)
endif()
if(TARN_FUZZ)
  add_compile_options(-fsanitize=fuzzer-no-link,address,undefined -g)
  add_link_options(-fsanitize=address,undefined)
endif()
