# Options that every target of this project is compiled with: `target_link_libraries(x PRIVATE tvmath_options)`.
add_library(tvmath_options INTERFACE)

target_compile_options(tvmath_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wnon-virtual-dtor -Woverloaded-virtual
  # Equal results on machines with and without fused multiply-add.
  -ffp-contract=off
  # Nothing here reads errno after a mathematical function, and only without it are square roots vectorised.
  -fno-math-errno)

# The instrumentation of the sanitizers makes the compiler warn of paths that do not exist; the plain build is the judge.
if(TVMATH_WARNINGS_AS_ERRORS AND NOT TVMATH_SANITIZE)
  target_compile_options(tvmath_options INTERFACE -Werror)
endif()

if(TVMATH_SANITIZE)
  target_compile_options(tvmath_options INTERFACE
    -fsanitize=${TVMATH_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(tvmath_options INTERFACE -fsanitize=${TVMATH_SANITIZE})
endif()
