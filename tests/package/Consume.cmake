# Configures, builds and runs the project in SOURCE from nothing, against the package in PREFIX.

cmake_minimum_required(VERSION 3.25)

file(REMOVE_RECURSE "${BINARY}")
set(ENV{PKG_CONFIG_PATH} "${PREFIX}/${LIBDIR}/pkgconfig")

function(run)
  execute_process(COMMAND ${ARGV} COMMAND_ERROR_IS_FATAL ANY)
endfunction()

run("${CMAKE_COMMAND}" -S "${SOURCE}" -B "${BINARY}" -G "${GENERATOR}" "-DCMAKE_CXX_COMPILER=${CXX}"
    "-DCMAKE_CXX_COMPILER_LAUNCHER=${LAUNCHER}" "-DCMAKE_PREFIX_PATH=${PREFIX}" "-DBUILD_SHARED_LIBS=${SHARED}")
run("${CMAKE_COMMAND}" --build "${BINARY}" -j2)
run("${BINARY}/consumer")
