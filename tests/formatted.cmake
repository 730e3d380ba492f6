# Fails when a C++ file of the project is not as the repository's .clang-format lays it out.
file(GLOB_RECURSE files
    ${ROOT}/src/*.cpp ${ROOT}/src/*.h ${ROOT}/tests/*.cpp ${ROOT}/tests/*.h
    ${ROOT}/bench/*.cpp ${ROOT}/bench/*.h)
execute_process(COMMAND ${CLANG_FORMAT} --dry-run -Werror ${files}
    RESULT_VARIABLE status ERROR_VARIABLE report)
if(NOT status EQUAL 0)
    message(FATAL_ERROR "not formatted (run clang-format -i on these):\n${report}")
endif()
list(LENGTH files count)
message(STATUS "${count} files formatted")
