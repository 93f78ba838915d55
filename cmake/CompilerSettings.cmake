# What every target of this project is compiled with. No -ffast-math: results that are not a number mean something.
add_library(velan_settings INTERFACE)
target_compile_options(velan_settings INTERFACE -Wall -Wextra -Wpedantic -Wconversion -Wshadow)
# Nothing that is built tells where that was.
target_compile_options(velan_settings INTERFACE -ffile-prefix-map=${PROJECT_BINARY_DIR}=build
                                                -ffile-prefix-map=${PROJECT_SOURCE_DIR}=.)
if(VELAN_WERROR)
  target_compile_options(velan_settings INTERFACE -Werror)
endif()
if(VELAN_SANITIZE)
  target_compile_options(velan_settings INTERFACE -fsanitize=${VELAN_SANITIZE} -fno-omit-frame-pointer
                                                  -fno-sanitize-recover=all)
  target_link_options(velan_settings INTERFACE -fsanitize=${VELAN_SANITIZE})
  # Between the checks g++ loses sight of what is initialised, even in its own headers of instructions. Its checks take
  # the address of constants, which would then be unique in the process and keep the library loaded.
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    target_compile_options(velan_settings INTERFACE -Wno-uninitialized -Wno-maybe-uninitialized -fno-gnu-unique)
  endif()
endif()
if(VELAN_FUZZ)
  target_compile_options(velan_settings INTERFACE -fsanitize=fuzzer-no-link)
endif()
if(VELAN_COVERAGE)
  target_compile_options(velan_settings INTERFACE --coverage)
  target_link_options(velan_settings INTERFACE --coverage)
endif()
