# expat, GoogleTest, Google Benchmark and OpenSSL for the chosen architecture. The i386 expat
# is unpacked from Debian's packages into the build tree by scripts/install-deps.sh (it cannot
# be installed beside the 64-bit one); GoogleTest is built from source where Debian's binary
# does not fit.
if(QN_M32)
  set(QN_I386_ROOT "${PROJECT_SOURCE_DIR}/build/deps/i386" CACHE PATH "Unpacked i386 packages")
  set(QN_EXPAT_LIB "${QN_I386_ROOT}/usr/lib/i386-linux-gnu/libexpat.a")
  if(NOT EXISTS "${QN_EXPAT_LIB}" OR NOT EXISTS "${QN_I386_ROOT}/usr/include/expat.h")
    message(FATAL_ERROR "i386 expat missing under ${QN_I386_ROOT}: run scripts/install-deps.sh")
  endif()
  add_library(qn_expat STATIC IMPORTED)
  # expat_config.h sits in the multiarch folder of the unpacked package.
  set_target_properties(qn_expat PROPERTIES IMPORTED_LOCATION "${QN_EXPAT_LIB}"
    INTERFACE_INCLUDE_DIRECTORIES
      "${QN_I386_ROOT}/usr/include;${QN_I386_ROOT}/usr/include/i386-linux-gnu")
else()
  find_package(EXPAT REQUIRED)
  add_library(qn_expat INTERFACE)
  target_link_libraries(qn_expat INTERFACE EXPAT::EXPAT)
endif()

if(QN_TESTS)
  if(QN_M32 OR QN_SANITIZE)
    # Debian ships GoogleTest built for the host only and without sanitizers: build it here,
    # with the project's architecture and sanitizer flags.
    set(INSTALL_GTEST OFF CACHE BOOL "" FORCE)
    set(BUILD_GMOCK OFF CACHE BOOL "" FORCE)
    add_subdirectory(/usr/src/googletest "${CMAKE_BINARY_DIR}/googletest" EXCLUDE_FROM_ALL)
    foreach(t gtest gtest_main)
      # Not our code: its warnings are not ours to fail on.
      target_compile_options(${t} PRIVATE -Wno-error)
    endforeach()
    foreach(t gtest gtest_main)
      if(NOT TARGET GTest::${t})
        add_library(GTest::${t} ALIAS ${t})
      endif()
    endforeach()
  else()
    find_package(GTest REQUIRED)
  endif()
endif()

if(QN_BENCH)
  find_package(benchmark REQUIRED)
  find_package(OpenSSL REQUIRED COMPONENTS Crypto)
endif()
