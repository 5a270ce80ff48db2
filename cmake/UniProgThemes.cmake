# uniprog_add_theme_test(NAME <test> TEMPLATE <style sheet> THEMES <theme>...
#                        [FONTS <folder>...] [MARKERS <regular expression>] [STRICT])
# A test that runs uniprog-theme on the themes of an application. FONTS are folders with the fonts that the application has
# in its resources; MARKERS finds the markers of the template, if they are not written as @name@; with STRICT warnings fail
# the test too. Without the command (a package built without examples) there is no test.
function(uniprog_add_theme_test)
    cmake_parse_arguments(arg "STRICT" "NAME;TEMPLATE;MARKERS" "THEMES;FONTS" ${ARGN})
    if(NOT TARGET UniProg::uniprog-theme)
        message(STATUS "uniprog-theme is missing: ${arg_NAME} is left out")
        return()
    endif()
    set(options)
    if(arg_STRICT)
        list(APPEND options --strict)
    endif()
    if(arg_MARKERS)
        list(APPEND options --markers "${arg_MARKERS}")
    endif()
    foreach(folder IN LISTS arg_FONTS)
        list(APPEND options --fonts "${folder}")
    endforeach()
    add_test(NAME ${arg_NAME} WORKING_DIRECTORY "${CMAKE_CURRENT_SOURCE_DIR}"
        COMMAND UniProg::uniprog-theme ${options} "${arg_TEMPLATE}" ${arg_THEMES})
endfunction()
