# Where `cmake --install` puts things. The prefix is the home directory for "user" (default: the invoking user's), and
# the file system's root for the other two.
#
#   user     <home>/.brindle/Brindle/{bin,Resource,Logs}, <home>/.brindle/temp
#   machine  /usr/local/Brindle/{bin,Resource,temp}, /var/log/Brindle
#   reach    /usr/local/OstrelReach/{bin,Resource,temp}, /var/log/OstrelReach

if(BRINDLE_LAYOUT STREQUAL "user")
    set(defaultPrefix "$ENV{HOME}")
    set(BRINDLE_BIN_DIR ".brindle/Brindle/bin")
    set(BRINDLE_RESOURCE_DIR ".brindle/Brindle/Resource")
    set(BRINDLE_LOG_DIR ".brindle/Brindle/Logs")
    set(BRINDLE_PIPE_DIR ".brindle/temp")
elseif(BRINDLE_LAYOUT STREQUAL "machine" OR BRINDLE_LAYOUT STREQUAL "reach")
    set(defaultPrefix "/")
    if(BRINDLE_LAYOUT STREQUAL "machine")
        set(product Brindle)
    else()
        set(product OstrelReach)
    endif()
    set(BRINDLE_BIN_DIR "usr/local/${product}/bin")
    set(BRINDLE_RESOURCE_DIR "usr/local/${product}/Resource")
    set(BRINDLE_LOG_DIR "var/log/${product}")
    set(BRINDLE_PIPE_DIR "usr/local/${product}/temp")
else()
    message(FATAL_ERROR "BRINDLE_LAYOUT is \"${BRINDLE_LAYOUT}\"; it must be user, machine or reach")
endif()
if(CMAKE_INSTALL_PREFIX_INITIALIZED_TO_DEFAULT)
    set(CMAKE_INSTALL_PREFIX "${defaultPrefix}" CACHE PATH "Home directory, or the file system's root" FORCE)
endif()

# The directories that the program expects and never makes itself. A user's are nobody else's; what a package lays out
# is only copied by each user, see packaging/brindle-user-install.
set(rights OWNER_READ OWNER_WRITE OWNER_EXECUTE)
if(BRINDLE_PACKAGE OR NOT BRINDLE_LAYOUT STREQUAL "user")
    list(APPEND rights GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
endif()
foreach(directory IN ITEMS ${BRINDLE_LOG_DIR} ${BRINDLE_PIPE_DIR})
    install(DIRECTORY DESTINATION ${directory} COMPONENT runtime DIRECTORY_PERMISSIONS ${rights})
endforeach()
