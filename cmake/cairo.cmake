# The PNG, SVG and PDF pages of the graphics library need cairo's headers; the library itself is loaded when such a page is
# opened, so that a start of the program does not wait for it. Without the headers those devices cannot be opened.
find_path(CAIRO_INCLUDE_DIR cairo/cairo.h)
function(tarncairo target)
  if(CAIRO_INCLUDE_DIR AND UNIX)
    target_include_directories(${target} PRIVATE ${CAIRO_INCLUDE_DIR} ${CAIRO_INCLUDE_DIR}/cairo)
    target_link_libraries(${target} PRIVATE ${CMAKE_DL_LIBS})
  else()
    set_source_files_properties(vellum/cairodevice.cpp vellum/cairolib.cpp PROPERTIES HEADER_FILE_ONLY ON)
    target_sources(${target} PRIVATE vellum/absent/cairodevice.cpp)
  endif()
endfunction()
