# One static library for each folder of src/, named ombrix_<folder>. Headers are included as "folder/file.h".
function(ombrix_folder folder)
  file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/src/${folder}/*.cpp)
  add_library(ombrix_${folder} STATIC ${sources})
  target_include_directories(ombrix_${folder} PUBLIC ${CMAKE_SOURCE_DIR}/src)
  target_link_libraries(ombrix_${folder} PUBLIC ${ARGN})
endfunction()
