# Read by CPack for each package: which components go into it.

list(GET CPACK_INSTALL_CMAKE_PROJECTS 0 build_folder)
if(CPACK_GENERATOR STREQUAL "DEB")
    set(components Unspecified debian)
else()
    set(components Unspecified anywhere archive)
endif()
set(CPACK_INSTALL_CMAKE_PROJECTS "")
foreach(component IN LISTS components)
    list(APPEND CPACK_INSTALL_CMAKE_PROJECTS "${build_folder}" vantrel ${component} /)
endforeach()
