# Run by ctest: install, configure, build and run the consumer; the first command that fails ends the test.

function(run)
    execute_process(COMMAND ${ARGN} RESULT_VARIABLE result)
    if(NOT result EQUAL 0)
        message(FATAL_ERROR "Failed (${result}): ${ARGN}")
    endif()
endfunction()

set(prefix "${WORK}/prefix")
file(REMOVE_RECURSE "${WORK}")
run(${CMAKE_COMMAND} --install "${LIBRARY_BUILD}" --prefix "${prefix}")

set(ENV{PKG_CONFIG_PATH} "${prefix}/${LIBDIR}/pkgconfig")
set(flags "")
if(SANITIZE)
    set(flags "-fsanitize=${SANITIZE}")
endif()
run(${CMAKE_COMMAND} -G ${GENERATOR} -S "${SOURCE}" -B "${WORK}/build"
    "-DREADME=${README}"
    "-DCONSUMER_WAY=${WAY}"
    "-DCMAKE_PREFIX_PATH=${prefix}"
    "-DCMAKE_CXX_COMPILER=${COMPILER}"
    "-DCMAKE_CXX_COMPILER_LAUNCHER=${LAUNCHER}"
    "-DCMAKE_CXX_FLAGS=${flags}")
run(${CMAKE_COMMAND} --build "${WORK}/build")
set(ENV{LD_LIBRARY_PATH} "${prefix}/${LIBDIR}")
run("${WORK}/build/consumer")
run(${CMAKE_CTEST_COMMAND} --test-dir "${WORK}/build" --output-on-failure)
