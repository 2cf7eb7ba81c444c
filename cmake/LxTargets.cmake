# Shared helpers for the module's targets.
#
#   lx_portable_library(NAME SOURCES ... [LIBS ...])  a static library of portable code
#   lx_win32_library(NAME SOURCES ... [LIBS ...])     a static library built only for Windows
#   lx_add_test(NAME SOURCES ... [LIBS ...])          a GoogleTest program registered with CTest
#                                                     (run under Wine when cross-compiling)
#   lx_add_fuzz(NAME SOURCE [LIBS ...] [CORPUS dir])  a fuzz target; natively it also runs as a
#                                                     test over its corpus plus random mutations
#
# With LX_LIBFUZZER (preset fuzz, clang) the build holds only the fuzz targets, linked with
# libFuzzer; target lx_fuzzers builds them all, and each is a test that fuzzes for
# LX_FUZZ_SECONDS seconds starting from its committed corpus (scripts/fuzz.sh).

set(LX_WARNINGS -Wall -Wextra -Wno-unused-parameter -Wno-missing-field-initializers)

if(LX_SANITIZE AND NOT WIN32)
  add_compile_options(-fsanitize=address,undefined -fno-omit-frame-pointer -fno-sanitize-recover=undefined)
  add_link_options(-fsanitize=address,undefined)
endif()

if(LX_LIBFUZZER AND NOT WIN32)
  # Coverage for the code under test, not only the fuzz program itself.
  add_compile_options(-fsanitize=fuzzer-no-link)
endif()

if(WIN32)
  # Only Windows system DLLs may be imported: the C++ runtime, libgcc and winpthread are static.
  add_link_options(-static -static-libgcc -static-libstdc++)
  add_compile_definitions(UNICODE _UNICODE WIN32_LEAN_AND_MEAN NOMINMAX _WIN32_WINNT=0x0A00 WINVER=0x0A00)
endif()

function(lx_portable_library name)
  cmake_parse_arguments(A "" "" "SOURCES;LIBS" ${ARGN})
  add_library(${name} STATIC ${A_SOURCES})
  target_include_directories(${name} PUBLIC ${CMAKE_CURRENT_SOURCE_DIR})
  target_compile_options(${name} PRIVATE ${LX_WARNINGS})
  # A folder of ours that has no sources yet makes no library; link ours only where they exist.
  foreach(lib ${A_LIBS})
    if(lib MATCHES "^lx_")
      target_link_libraries(${name} PUBLIC $<TARGET_NAME_IF_EXISTS:${lib}>)
    else()
      target_link_libraries(${name} PUBLIC ${lib})
    endif()
  endforeach()
  set_target_properties(${name} PROPERTIES POSITION_INDEPENDENT_CODE ON)
endfunction()

function(lx_win32_library name)
  if(WIN32)
    lx_portable_library(${name} ${ARGN})
  endif()
endfunction()

function(lx_add_test name)
  if(LX_LIBFUZZER)
    return()
  endif()
  cmake_parse_arguments(A "" "" "SOURCES;LIBS" ${ARGN})
  add_executable(${name} ${A_SOURCES})
  target_compile_options(${name} PRIVATE ${LX_WARNINGS})
  target_link_libraries(${name} PRIVATE ${A_LIBS} GTest::gtest GTest::gmock)
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR}/tests/common)
  target_sources(${name} PRIVATE ${PROJECT_SOURCE_DIR}/tests/common/TestMain.cpp)
  if(WIN32)
    # Windows test programs carry the module's resources, so strings load from their own image.
    target_sources(${name} PRIVATE $<TARGET_OBJECTS:lx_resources>)
  endif()
  add_test(NAME ${name} COMMAND ${name})
  set_tests_properties(${name} PROPERTIES
    ENVIRONMENT "LX_SOURCE_DIR=${PROJECT_SOURCE_DIR};LX_BINARY_DIR=${PROJECT_BINARY_DIR}"
    TIMEOUT 900)
endfunction()

function(lx_add_fuzz name source)
  cmake_parse_arguments(A "" "CORPUS" "LIBS" ${ARGN})
  if(WIN32)
    return()
  endif()
  add_executable(${name} ${source})
  target_link_libraries(${name} PRIVATE ${A_LIBS})
  set(corpus ${A_CORPUS})
  if(NOT corpus)
    set(corpus ${PROJECT_SOURCE_DIR}/tests/fuzz/corpus/${name})
  endif()
  if(LX_LIBFUZZER)
    target_compile_options(${name} PRIVATE -fsanitize=fuzzer)
    target_link_options(${name} PRIVATE -fsanitize=fuzzer)
    add_dependencies(lx_fuzzers ${name})
    # New inputs go to a scratch folder named first; the committed corpus is only read.
    # Any crash, leak, hang of over 10 s per input or allocation beyond 2 GB fails the test
    # and leaves the input in build/fuzz/crashes/.
    set(scratch ${PROJECT_BINARY_DIR}/corpus/${name})
    set(crashes ${PROJECT_BINARY_DIR}/crashes)
    file(MAKE_DIRECTORY ${scratch} ${crashes})
    add_test(NAME ${name} COMMAND ${name} -max_total_time=${LX_FUZZ_SECONDS} -timeout=10 -rss_limit_mb=2048
             -print_final_stats=1 -artifact_prefix=${crashes}/${name}- ${scratch} ${corpus})
    set_tests_properties(${name} PROPERTIES TIMEOUT 600 LABELS fuzz)
  else()
    target_sources(${name} PRIVATE ${PROJECT_SOURCE_DIR}/tests/fuzz/FuzzDriver.cpp)
    add_test(NAME ${name} COMMAND ${name} --runs=3000 ${corpus})
    set_tests_properties(${name} PROPERTIES TIMEOUT 600)
  endif()
endfunction()

if(LX_LIBFUZZER)
  set(LX_FUZZ_SECONDS 10 CACHE STRING "How long each fuzz target runs as a test")
  add_custom_target(lx_fuzzers)
endif()

# lx_folder(NAME [LIBS ...] [WIN32_LIBS ...])
# One folder of the source tree as one static library, by convention:
#   <folder>/*.cpp          portable code, built in both configurations
#   <folder>/win32/*.cpp    Windows code, built only in the windows configuration
# and its tests, in the mirrored folder under tests/:
#   tests/<folder>/*Test.cpp        one test program each, both configurations
#   tests/<folder>/win32/*Test.cpp  one test program each, Windows only (run under Wine)
#   tests/<folder>/fuzz/*Fuzz.cpp   one fuzz target each (native), corpus in fuzz/corpus/<Name>/
# Test programs link the folder's library and TEST_LIBS.
function(lx_folder name)
  cmake_parse_arguments(A "" "" "LIBS;WIN32_LIBS;TEST_LIBS" ${ARGN})
  file(GLOB portable CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp)
  set(sources ${portable})
  if(WIN32)
    file(GLOB win CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/win32/*.cpp)
    list(APPEND sources ${win})
  endif()
  if(NOT sources)
    return()
  endif()
  set(libs ${A_LIBS})
  if(WIN32)
    list(APPEND libs ${A_WIN32_LIBS})
  endif()
  lx_portable_library(${name} SOURCES ${sources} LIBS ${libs})
  if(WIN32)
    target_include_directories(${name} PUBLIC ${CMAKE_CURRENT_SOURCE_DIR}/win32)
  endif()

  file(RELATIVE_PATH rel ${PROJECT_SOURCE_DIR}/src ${CMAKE_CURRENT_SOURCE_DIR})
  set(testdir ${PROJECT_SOURCE_DIR}/tests/${rel})
  file(GLOB tests CONFIGURE_DEPENDS ${testdir}/*Test.cpp)
  if(WIN32)
    file(GLOB wintests CONFIGURE_DEPENDS ${testdir}/win32/*Test.cpp)
    list(APPEND tests ${wintests})
  endif()
  foreach(t ${tests})
    get_filename_component(stem ${t} NAME_WE)
    lx_add_test(${name}_${stem} SOURCES ${t} LIBS ${name} ${A_TEST_LIBS})
  endforeach()
  file(GLOB fuzzers CONFIGURE_DEPENDS ${testdir}/fuzz/*Fuzz.cpp)
  foreach(f ${fuzzers})
    get_filename_component(stem ${f} NAME_WE)
    lx_add_fuzz(${name}_${stem} ${f} LIBS ${name} CORPUS ${testdir}/fuzz/corpus/${stem})
  endforeach()
endfunction()
