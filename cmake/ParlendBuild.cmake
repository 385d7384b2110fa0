# Language level, warnings, hardening and sanitizers: the same for every target.
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)
# Paths below the source tree go to the compiler as relative ones, so that another clone finds its objects in the cache.
find_program(PARLEND_CCACHE ccache)
if(PARLEND_CCACHE)
  set(CMAKE_C_COMPILER_LAUNCHER
    ${CMAKE_COMMAND} -E env CCACHE_BASEDIR=${CMAKE_SOURCE_DIR} CCACHE_NOHASHDIR=1 CCACHE_SLOPPINESS=pch_defines,time_macros
    ${PARLEND_CCACHE})
  set(CMAKE_CXX_COMPILER_LAUNCHER ${CMAKE_C_COMPILER_LAUNCHER})
  cmake_path(RELATIVE_PATH CMAKE_SOURCE_DIR BASE_DIRECTORY ${CMAKE_BINARY_DIR} OUTPUT_VARIABLE PARLEND_SOURCES)
else()
  set(PARLEND_SOURCES ${CMAKE_SOURCE_DIR})
endif()
include(CheckPIESupported)
check_pie_supported()

# A log line names "stub/stubutil", whatever directory was built from. The last matching map wins.
set(PARLEND_PREFIX_MAP -fmacro-prefix-map=${PARLEND_SOURCES}/= -fmacro-prefix-map=${PARLEND_SOURCES}/src/=)

add_library(parlend_options INTERFACE)
target_compile_options(parlend_options INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Wnon-virtual-dtor -Werror
  -fstack-protector-strong -fno-omit-frame-pointer ${PARLEND_PREFIX_MAP})
target_compile_options(parlend_options INTERFACE -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2)
target_compile_definitions(parlend_options INTERFACE _GLIBCXX_ASSERTIONS _FILE_OFFSET_BITS=64 _TIME_BITS=64)
target_link_options(parlend_options INTERFACE -Wl,-z,relro,-z,now)
find_package(Threads REQUIRED)
target_link_libraries(parlend_options INTERFACE Threads::Threads)

if(PARLEND_SANITIZE)
  add_compile_options(-fsanitize=${PARLEND_SANITIZE} -fno-sanitize-recover=all)
  # What is instrumented looks uninitialised to GCC where it is not; Clang does not know that warning.
  add_compile_options($<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
  add_link_options(-fsanitize=${PARLEND_SANITIZE})
endif()

# A header-only library of the build machine, made visible without its whole include directory:
# a cross compiler must not see the build machine's C headers.
function(parlend_header_library target entry)
  find_path(${target}_DIR NAMES ${entry} PATHS /usr/include NO_CMAKE_FIND_ROOT_PATH NO_DEFAULT_PATH REQUIRED)
  set(link ${CMAKE_BINARY_DIR}/headers/${target})
  file(MAKE_DIRECTORY ${link})
  if(NOT EXISTS ${link}/${entry})
    file(CREATE_LINK ${${target}_DIR}/${entry} ${link}/${entry} SYMBOLIC)
  endif()
  add_library(${target} INTERFACE)
  target_include_directories(${target} SYSTEM INTERFACE ${link})
endfunction()
