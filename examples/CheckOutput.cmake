# Runs COMMAND, a list, and compares its standard output with the file EXPECTED and its exit code with RESULT, or 0.

cmake_minimum_required(VERSION 3.25)

if(NOT RESULT)
  set(RESULT 0)
endif()
file(READ "${EXPECTED}" expected)
execute_process(COMMAND ${COMMAND} OUTPUT_VARIABLE printed RESULT_VARIABLE result)
if(NOT result STREQUAL RESULT)
  message(FATAL_ERROR "expected the exit code ${RESULT}, got ${result}")
endif()
if(NOT printed STREQUAL expected)
  message(FATAL_ERROR "expected:\n${expected}\nprinted:\n${printed}")
endif()
