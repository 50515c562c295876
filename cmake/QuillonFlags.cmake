# Warning, architecture and sanitizer flags shared by every target of the project.

# -m32 is given to the compiler checks before project(); an existing 64-bit cache cannot be
# switched afterwards, and a half-switched build links 64-bit libraries into 32-bit objects.
if(QN_M32 AND NOT CMAKE_SIZEOF_VOID_P EQUAL 4)
  message(FATAL_ERROR "QN_M32=ON needs a fresh build directory (this one was configured for "
                      "${CMAKE_SIZEOF_VOID_P}-byte pointers)")
endif()
if(NOT QN_M32 AND CMAKE_SIZEOF_VOID_P EQUAL 4)
  message(FATAL_ERROR "this build directory was configured with -m32: use a fresh one")
endif()
if(QN_FUZZ AND NOT CMAKE_CXX_COMPILER_ID MATCHES "Clang")
  message(FATAL_ERROR "QN_FUZZ needs clang (libFuzzer): configure with CXX=clang++ CC=clang")
endif()
if(QN_BENCH AND QN_M32)
  message(FATAL_ERROR "the benchmarks are x86-64 only (Debian has no i386 Google Benchmark "
                      "beside the 64-bit one)")
endif()

add_compile_options(-Wall -Wextra)
if(QN_WERROR)
  # Third-party code built inside the tree (GoogleTest) takes -Wno-error back; see
  # QuillonDeps.cmake.
  add_compile_options(-Werror)
endif()

set(QN_SANITIZER_FLAGS -fsanitize=address,undefined -fno-sanitize-recover=undefined
                       -fno-omit-frame-pointer)
if(QN_SANITIZE)
  add_compile_options(${QN_SANITIZER_FLAGS})
  add_link_options(-fsanitize=address,undefined)
endif()
if(QN_FUZZ)
  # Every object carries coverage so that the fuzzers see into the library; only the fuzz
  # targets themselves link libFuzzer's main (fuzz/CMakeLists.txt).
  add_compile_options(-fsanitize=fuzzer-no-link ${QN_SANITIZER_FLAGS})
  add_link_options(-fsanitize=address,undefined)
endif()

# Gives each source the module name the runtime records with its errors: its path below the
# project root without extension ("rtbersrc/xd_len").
function(qn_set_module_names)
  foreach(src IN LISTS ARGN)
    get_filename_component(abs "${src}" ABSOLUTE)
    file(RELATIVE_PATH rel "${PROJECT_SOURCE_DIR}" "${abs}")
    string(REGEX REPLACE "\\.[^./]+$" "" mod "${rel}")
    set_property(SOURCE "${src}" APPEND PROPERTY COMPILE_DEFINITIONS "QN_MODULE=\"${mod}\"")
  endforeach()
endfunction()
