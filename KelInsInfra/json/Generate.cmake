# Makes the JSON scanner and parser from their sources with flex and bison, in a folder of its own; then copies them to
# the sources, or with CHECK=ON compares them.
if(NOT FLEX OR NOT BISON)
    message(FATAL_ERROR "flex and bison are needed: install the packages flex and bison")
endif()

file(REMOVE_RECURSE ${WORK})
file(MAKE_DIRECTORY ${WORK}/internal)
file(COPY ${SOURCES}/Scanner.l ${SOURCES}/Parser.yy DESTINATION ${WORK})
execute_process(WORKING_DIRECTORY ${WORK} COMMAND_ERROR_IS_FATAL ANY
    COMMAND ${FLEX} --noline --outfile=Scanner.cpp Scanner.l)
execute_process(WORKING_DIRECTORY ${WORK} COMMAND_ERROR_IS_FATAL ANY
    COMMAND ${BISON} --no-lines --output=Parser.cpp --header=internal/Parser.h Parser.yy)

# Replaces a text that must be there once in what was generated, under the name in `variable`.
function(replace_once variable old new)
    string(FIND "${${variable}}" "${old}" first)
    string(FIND "${${variable}}" "${old}" last REVERSE)
    if(first EQUAL -1 OR NOT first EQUAL last)
        message(FATAL_ERROR "Not once in ${name}: ${old}")
    endif()
    string(REPLACE "${old}" "${new}" result "${${variable}}")
    set(${variable} "${result}" PARENT_SCOPE)
endfunction()

foreach(name IN ITEMS Scanner.cpp Parser.cpp internal/Parser.h)
    file(READ ${WORK}/${name} text)
    string(REGEX REPLACE "[ \t]+\n" "\n" text "${text}") # no blanks at line ends in what is committed
    if(name STREQUAL internal/Parser.h)
        replace_once(text "typedef stack<stack_symbol_type> stack_type;" "typedef InlineStack<stack_symbol_type, 200> stack_type;")
    endif()
    file(WRITE ${WORK}/${name} "${text}")
    if(NOT CHECK)
        configure_file(${WORK}/${name} ${SOURCES}/${name} COPYONLY)
        continue()
    endif()
    execute_process(COMMAND ${CMAKE_COMMAND} -E compare_files ${WORK}/${name} ${SOURCES}/${name} RESULT_VARIABLE differs)
    if(differs)
        message(FATAL_ERROR "${name} is not what its source gives: build the target regenerate and commit the result")
    endif()
endforeach()
