# The generated layer: at build time our ASN.1 compiler (tools/asn1gen) writes one header and
# one source per module text of modules/ into the build tree, and the sources are compiled into
# the library. Editing a module text or the compiler regenerates; the compiler leaves files
# whose text did not change untouched, so only the modules that really changed are recompiled.
# Included from src/CMakeLists.txt, which defines the target (a custom command's outputs must be
# used in the directory that declares it).
find_package(Python3 REQUIRED COMPONENTS Interpreter)
include(GNUInstallDirs)

file(GLOB QN_MODULE_TEXTS CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/modules/*.asn")
file(GLOB_RECURSE QN_COMPILER_SOURCES CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/tools/asn1gen/*.py")
list(FILTER QN_COMPILER_SOURCES EXCLUDE REGEX "/tools/asn1gen/tests/")

set(QN_GENERATED_INCLUDE_DIR "${CMAKE_BINARY_DIR}/generated")
set(QN_GENERATED_DIR "${QN_GENERATED_INCLUDE_DIR}/quillon/modules")
set(QN_GENERATED_SOURCES "")
set(QN_GENERATED_HEADERS "")
foreach(text IN LISTS QN_MODULE_TEXTS)
  # Files are named after the ASN.1 module; our texts are named after their module too.
  get_filename_component(module "${text}" NAME_WE)
  list(APPEND QN_GENERATED_SOURCES "${QN_GENERATED_DIR}/${module}.cpp")
  list(APPEND QN_GENERATED_HEADERS "${QN_GENERATED_DIR}/${module}.h")
endforeach()

add_custom_command(
  OUTPUT ${QN_GENERATED_SOURCES} ${QN_GENERATED_HEADERS}
  COMMAND ${Python3_EXECUTABLE} -B -m asn1gen --modules "${PROJECT_SOURCE_DIR}/modules"
          --generate --out "${QN_GENERATED_DIR}"
  WORKING_DIRECTORY "${PROJECT_SOURCE_DIR}/tools"
  DEPENDS ${QN_MODULE_TEXTS} ${QN_COMPILER_SOURCES}
  COMMENT "Generating C++ for ${CMAKE_PROJECT_NAME}'s ASN.1 modules"
  VERBATIM)

target_sources(quillon PRIVATE ${QN_GENERATED_SOURCES})
target_include_directories(quillon PUBLIC $<BUILD_INTERFACE:${QN_GENERATED_INCLUDE_DIR}>)
# The generated sources record the ASN.1 module name with their errors themselves.
set_property(GLOBAL APPEND PROPERTY QN_PUBLIC_HEADER_DIRS "${QN_GENERATED_DIR}")
install(FILES ${QN_GENERATED_HEADERS} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/quillon/modules)
