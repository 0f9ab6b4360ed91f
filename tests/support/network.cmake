# Read by ctest before it starts: says once what each test would find out for itself.
execute_process(COMMAND sh ${CMAKE_CURRENT_LIST_DIR}/network.sh
    OUTPUT_VARIABLE shared ERROR_VARIABLE reason RESULT_VARIABLE result
    OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_STRIP_TRAILING_WHITESPACE)
if(shared AND NOT DEFINED ENV{CAMPARAM_TEST_NETWORK})
    message("${shared}")
    set(ENV{CAMPARAM_TEST_NETWORK} machine)
endif()
if(NOT result EQUAL 0)
    message(FATAL_ERROR "${reason}")
endif()
