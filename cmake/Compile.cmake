# What every target of ours is compiled with, and the runtime DLLs of the compiler.

add_library(kelins_warnings INTERFACE)
target_compile_options(kelins_warnings INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wnon-virtual-dtor -Wold-style-cast
    -Wcast-qual -Wformat=2 -Wimplicit-fallthrough -Wmissing-declarations)

# The runtime DLLs of the compiler, which programs and DLLs built with it need beside them; without their debug symbols, which
# are ten times their size, and with sections that begin at a page of the file, so that they are mapped and not read.
function(kelins_runtime_dlls variable)
    set(dlls "")
    foreach(name IN ITEMS libstdc++-6.dll libgcc_s_seh-1.dll libwinpthread-1.dll)
        execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=${name}
            OUTPUT_VARIABLE path OUTPUT_STRIP_TRAILING_WHITESPACE)
        if(NOT IS_ABSOLUTE "${path}") # compilers that run on Windows have them beside themselves
            get_filename_component(folder ${CMAKE_CXX_COMPILER} DIRECTORY)
            find_file(path_of_${name} ${name} PATHS ${folder} NO_DEFAULT_PATH NO_CACHE)
            set(path ${path_of_${name}})
        endif()
        if(NOT IS_ABSOLUTE "${path}")
            message(FATAL_ERROR "The compiler does not tell where ${name} is")
        endif()
        set(stripped ${CMAKE_BINARY_DIR}/runtime/${name})
        if(NOT EXISTS ${stripped} OR ${path} IS_NEWER_THAN ${stripped})
            file(MAKE_DIRECTORY ${CMAKE_BINARY_DIR}/runtime)
            execute_process(COMMAND ${CMAKE_OBJCOPY} -p --strip-unneeded --file-alignment 4096 ${path} ${stripped}
                COMMAND_ERROR_IS_FATAL ANY)
            file(TOUCH ${stripped})
        endif()
        list(APPEND dlls ${stripped})
    endforeach()
    set(${variable} ${dlls} PARENT_SCOPE)
endfunction()

# Copies the runtime DLLs beside the program or DLL of a target.
function(kelins_copy_runtime target)
    if(NOT MINGW)
        return()
    endif()
    kelins_runtime_dlls(dlls)
    add_custom_command(TARGET ${target} POST_BUILD
        COMMAND ${CMAKE_COMMAND} -E copy_if_different ${dlls} $<TARGET_FILE_DIR:${target}>
        VERBATIM)
endfunction()

# Moves the debug symbols of a DLL into <name>.debug beside it, where a debugger finds them by the link left in the DLL. "-p", here
# and above, keeps the linker's time stamp, or its absence: the tools would put in theirs.
function(kelins_split_symbols target)
    set(symbols $<TARGET_FILE:${target}>.debug)
    add_custom_command(TARGET ${target} POST_BUILD
        COMMAND ${CMAKE_OBJCOPY} -p --only-keep-debug $<TARGET_FILE:${target}> ${symbols}
        COMMAND ${CMAKE_STRIP} -p --strip-unneeded $<TARGET_FILE:${target}>
        COMMAND ${CMAKE_OBJCOPY} -p --add-gnu-debuglink=${symbols} $<TARGET_FILE:${target}>
        VERBATIM)
endfunction()
