# expat and GoogleTest for the chosen architecture. The i386 expat is unpacked from Debian's
# packages into the build tree by scripts/install-deps.sh; GoogleTest is built from source there.
if(QN_M32)
  set(QN_I386_ROOT "${PROJECT_SOURCE_DIR}/build/deps/i386" CACHE PATH "Unpacked i386 packages")
  set(QN_EXPAT_LIB "${QN_I386_ROOT}/usr/lib/i386-linux-gnu/libexpat.a")
  if(NOT EXISTS "${QN_EXPAT_LIB}")
    message(FATAL_ERROR "i386 expat missing: run scripts/install-deps.sh")
  endif()
  add_library(qn_expat STATIC IMPORTED)
  set_target_properties(qn_expat PROPERTIES IMPORTED_LOCATION "${QN_EXPAT_LIB}"
    INTERFACE_INCLUDE_DIRECTORIES "${QN_I386_ROOT}/usr/include")
else()
  find_package(EXPAT REQUIRED)
  add_library(qn_expat INTERFACE)
  target_link_libraries(qn_expat INTERFACE EXPAT::EXPAT)
endif()

if(QN_TESTS OR QN_FUZZ)
  if(QN_M32 OR QN_SANITIZE)
    # Debian ships GoogleTest built for the host only, without sanitizers: build it here.
    set(INSTALL_GTEST OFF CACHE BOOL "" FORCE)
    set(BUILD_GMOCK OFF CACHE BOOL "" FORCE)
    add_subdirectory(/usr/src/googletest "${CMAKE_BINARY_DIR}/googletest" EXCLUDE_FROM_ALL)
    add_library(GTest::gtest ALIAS gtest)
    add_library(GTest::gtest_main ALIAS gtest_main)
  else()
    find_package(GTest REQUIRED)
  endif()
endif()
