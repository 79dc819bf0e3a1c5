# Runs COMMAND, a list, and compares its standard output with the file EXPECTED.

cmake_minimum_required(VERSION 3.25)

file(READ "${EXPECTED}" expected)
execute_process(COMMAND ${COMMAND} OUTPUT_VARIABLE printed COMMAND_ERROR_IS_FATAL ANY)
if(NOT printed STREQUAL expected)
  message(FATAL_ERROR "expected:\n${expected}\nprinted:\n${printed}")
endif()
