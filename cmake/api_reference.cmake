# The API reference: pages made from the comments of the installed headers, in api-reference/ of the build folder.
# Doxygen stops at a public declaration without a comment.
find_package(Doxygen QUIET)
if(NOT DOXYGEN_FOUND)
    return()
endif()

set(DOXYGEN_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/api-reference)
set(DOXYGEN_STRIP_FROM_PATH ${PROJECT_SOURCE_DIR})
set(DOXYGEN_PREDEFINED ARBORIST_EXPORT=)
set(DOXYGEN_MACRO_EXPANSION YES)
set(DOXYGEN_DISTRIBUTE_GROUP_DOC YES)
set(DOXYGEN_WARN_NO_PARAMDOC NO)
set(DOXYGEN_WARN_AS_ERROR FAIL_ON_WARNINGS)
set(DOXYGEN_HAVE_DOT NO)
set(DOXYGEN_QUIET YES)
get_target_property(headers arborist HEADER_SET)
doxygen_add_docs(api_reference ${headers} COMMENT "Making the API reference")
