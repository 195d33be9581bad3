# add_layer(NAME FOLDER folder [USES public libraries and lower layers] [HIDES private libraries])
#
# A layer is a static library made of the sources directly in its folder, and that folder is its only include root:
# a header of a layer that is not listed under USES cannot be found, so an include against the layering does not
# compile. Libraries under HIDES are seen by the layer's own sources alone.
function(add_layer name)
    cmake_parse_arguments(LAYER "" "FOLDER" "USES;HIDES" ${ARGN})
    file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/${LAYER_FOLDER}/*.cpp
        ${CMAKE_SOURCE_DIR}/${LAYER_FOLDER}/*.h ${CMAKE_SOURCE_DIR}/${LAYER_FOLDER}/*.ui)
    add_library(${name} STATIC ${sources})
    target_include_directories(${name} PUBLIC ${CMAKE_SOURCE_DIR}/${LAYER_FOLDER})
    target_link_libraries(${name} PUBLIC ${LAYER_USES} PRIVATE ${LAYER_HIDES} vantor_options)
endfunction()
