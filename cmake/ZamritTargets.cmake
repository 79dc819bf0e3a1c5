# How the targets of this project are compiled; nothing of it reaches a consumer.

if(ZAMRIT_SANITIZE)
  add_compile_options(-fsanitize=${ZAMRIT_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${ZAMRIT_SANITIZE})
endif()

if(ZAMRIT_BUILD_FUZZ)
  if(NOT CMAKE_CXX_COMPILER_ID MATCHES Clang)
    message(FATAL_ERROR "ZAMRIT_BUILD_FUZZ needs clang++, the compiler is ${CMAKE_CXX_COMPILER}")
  endif()
  add_compile_options(-fsanitize=fuzzer-no-link)
endif()

# Language level and warnings for a target of ours.
function(zamrit_own_target target)
  target_compile_options(
    ${target} PRIVATE -Wall -Wextra -Wpedantic -Wconversion -Wshadow
                      $<$<BOOL:${ZAMRIT_WARNINGS_AS_ERRORS}>:-Werror>)
  set_target_properties(${target} PROPERTIES CXX_EXTENSIONS OFF)
endfunction()

# A program of ours that uses the library.
function(zamrit_add_program target)
  add_executable(${target} ${ARGN})
  target_link_libraries(${target} PRIVATE zamrit::zamrit)
  zamrit_own_target(${target})
endfunction()

function(zamrit_use_ccache)
  find_program(ZAMRIT_CCACHE ccache)
  if(ZAMRIT_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
    set(CMAKE_CXX_COMPILER_LAUNCHER "${ZAMRIT_CCACHE}" PARENT_SCOPE)
  endif()
endfunction()
