# Compiles FILE with COMPILER against the headers under ROOT: that must fail, and the first error must match the
# expression behind "// refused: " in the file's first line.
file(STRINGS "${FILE}" first LIMIT_COUNT 1)
string(REGEX REPLACE "^// refused: " "" expected "${first}")
execute_process(COMMAND "${COMPILER}" -std=c++20 -fsyntax-only "-I${ROOT}" "${FILE}" RESULT_VARIABLE result
                ERROR_VARIABLE text)
if(result EQUAL 0)
  message(FATAL_ERROR "${FILE} compiles")
endif()
string(REGEX MATCH "[^\n]*error:[^\n]*\n[^\n]*" error "${text}")
if(NOT error MATCHES "${expected}")
  message(FATAL_ERROR "The first error does not match \"${expected}\":\n${error}")
endif()
