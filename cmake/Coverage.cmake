# The library once more, neither optimised nor inlined, counting which of its lines and branches run; and the test programs, whose
# objects are the ordinary ones, linked with it: in <build>/counted, built and run by scripts/coverage.sh alone.

# The objects of a part of the library. What they are made from comes with kelins_portable_sources and kelins_windows_sources.
function(kelins_counted_objects objects)
    add_library(${objects}_counted OBJECT EXCLUDE_FROM_ALL)
    set_target_properties(${objects}_counted PROPERTIES EXPORT_COMPILE_COMMANDS OFF) # each source is linted once
    target_compile_options(${objects}_counted PRIVATE -O0 -fno-inline --coverage -fprofile-update=atomic)
    target_link_options(${objects}_counted INTERFACE --coverage)
endfunction()

# Counts as an ordinary target, beside which it lies under the same name: what that one is made and linked from.
function(kelins_counted_copy target)
    get_target_property(libraries ${target} LINK_LIBRARIES)
    list(TRANSFORM libraries REPLACE "kelins_portable|kelins_windows|^KelInsInfra$" "\\0_counted")
    target_link_libraries(${target}_counted PRIVATE ${libraries})
    set_target_properties(${target}_counted PROPERTIES OUTPUT_NAME ${target}
        RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/counted ARCHIVE_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/counted)
    kelins_copy_runtime(${target}_counted)
endfunction()

function(kelins_counted_program program)
    add_executable(${program}_counted EXCLUDE_FROM_ALL $<TARGET_OBJECTS:${program}>)
    kelins_counted_copy(${program})
endfunction()
