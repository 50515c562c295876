# Warning, architecture and sanitizer flags shared by every target of the project.
add_compile_options(-Wall -Wextra)
if(QN_M32)
  add_compile_options(-m32)
  add_link_options(-m32)
endif()
if(QN_SANITIZE)
  add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=undefined
                      -fno-omit-frame-pointer)
  add_link_options(-fsanitize=address,undefined)
endif()
if(QN_FUZZ)
  # Every object carries coverage so the fuzzers see into the library.
  add_compile_options(-fsanitize=fuzzer-no-link,address,undefined -fno-omit-frame-pointer)
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
