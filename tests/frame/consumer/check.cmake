# Installs the build BUILD under WORK, then builds and runs the program in SOURCE against the installed copy.
set(prefix ${WORK}/prefix)
set(flags "-std=c++20")
if(SANITIZE)
  string(APPEND flags " -fsanitize=${SANITIZE}")
endif()

function(run)
  execute_process(COMMAND ${ARGV} RESULT_VARIABLE status OUTPUT_VARIABLE output ERROR_VARIABLE output)
  if(NOT status EQUAL 0)
    message(FATAL_ERROR "${ARGV}\n${output}")
  endif()
endfunction()

file(REMOVE_RECURSE ${WORK})
run(${CMAKE_COMMAND} --install ${BUILD} --prefix ${prefix})

run(${CMAKE_COMMAND} -G ${GENERATOR} -S ${SOURCE} -B ${WORK}/by_cmake -DCMAKE_PREFIX_PATH=${prefix} -DCMAKE_CXX_COMPILER=${CXX}
    "-DCMAKE_CXX_FLAGS=${flags}")
run(${CMAKE_COMMAND} --build ${WORK}/by_cmake)
run(${WORK}/by_cmake/consumer)

find_program(PKG_CONFIG pkg-config REQUIRED)
set(ENV{PKG_CONFIG_PATH} ${prefix}/${LIBDIR}/pkgconfig)
execute_process(COMMAND ${PKG_CONFIG} --cflags --libs tvmath OUTPUT_VARIABLE found COMMAND_ERROR_IS_FATAL ANY)
separate_arguments(found UNIX_COMMAND "${found}")
separate_arguments(flags UNIX_COMMAND "${flags}")
run(${CXX} ${flags} ${SOURCE}/main.cpp ${found} -Wl,-rpath,${prefix}/${LIBDIR} -o ${WORK}/by_pkg_config)
run(${WORK}/by_pkg_config)
