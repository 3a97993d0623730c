# The library's objects once more, with counters of lines and branches, and the test programs linked to them: NAME_counted
# is made of the same objects as NAME. Nothing of it is built unless it is asked for.
if(OPCV_DLIB_COUNT)
    get_target_property(sources opcv_dlib_objects SOURCES)
    add_library(opcv_dlib_counted_objects OBJECT EXCLUDE_FROM_ALL ${sources})
    target_link_libraries(opcv_dlib_counted_objects
        PUBLIC opcv_dlib_house_flags OpenCVModules::OpenCVModules JPEG::JPEG Highway::Highway)
    foreach(property IN ITEMS INCLUDE_DIRECTORIES COMPILE_DEFINITIONS COMPILE_OPTIONS PRECOMPILE_HEADERS)
        get_target_property(value opcv_dlib_objects ${property})
        set_target_properties(opcv_dlib_counted_objects PROPERTIES ${property} "${value}")
    endforeach()
    # gcov tells a branch from an edge that only an exception takes where it still sees the call; so no function may be
    # known to be pure, or be gone, before it counts.
    target_compile_options(opcv_dlib_counted_objects PRIVATE
        -O1 --coverage -fprofile-update=atomic -fno-early-inlining -fno-ipa-pure-const)
    target_link_options(opcv_dlib_counted_objects PUBLIC --coverage)
endif()

# add_counted_program(NAME LIBRARY...): the libraries beside the objects under test.
function(add_counted_program name)
    if(OPCV_DLIB_COUNT)
        add_executable(${name}_counted EXCLUDE_FROM_ALL $<TARGET_OBJECTS:${name}>)
        target_link_libraries(${name}_counted PRIVATE ${ARGN} opcv_dlib_counted_objects)
        set_target_properties(${name}_counted PROPERTIES LINKER_LANGUAGE CXX)
    endif()
endfunction()
