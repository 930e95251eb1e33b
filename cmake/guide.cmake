# The operator's guide as a reader opens it: cmake --build build --target guide fills <build>/guide with one page for
# each chapter file and the pictures. Nothing else needs pandoc, so nobody else builds it.
set(chapters operator troubleshooting)
set(guide ${CMAKE_BINARY_DIR}/guide)
find_program(PANDOC pandoc)

if(PANDOC)
  file(GLOB pictures CONFIGURE_DEPENDS docs/pictures/*.png)
  set(pages "")
  foreach(chapter ${chapters})
    add_custom_command(OUTPUT ${guide}/${chapter}.html
      COMMAND ${CMAKE_COMMAND} -E make_directory ${guide}
      COMMAND ${PANDOC} --from gfm --to html5 --standalone --toc --toc-depth 1 --lua-filter docs/guide/links.lua
        --shift-heading-level-by=-1 --include-in-header docs/guide/head.html --metadata document-css=false
        --metadata lang=en
        --output ${guide}/${chapter}.html docs/${chapter}.md
      DEPENDS docs/${chapter}.md docs/guide/head.html docs/guide/links.lua
      WORKING_DIRECTORY ${CMAKE_SOURCE_DIR} VERBATIM)
    list(APPEND pages ${guide}/${chapter}.html)
  endforeach()
  add_custom_command(OUTPUT ${CMAKE_BINARY_DIR}/guide.pictures
    COMMAND ${CMAKE_COMMAND} -E rm -rf ${guide}/pictures
    COMMAND ${CMAKE_COMMAND} -E make_directory ${guide}/pictures
    COMMAND ${CMAKE_COMMAND} -E copy ${pictures} ${guide}/pictures
    COMMAND ${CMAKE_COMMAND} -E touch ${CMAKE_BINARY_DIR}/guide.pictures
    DEPENDS ${pictures} VERBATIM)
  add_custom_target(guide DEPENDS ${pages} ${CMAKE_BINARY_DIR}/guide.pictures)
else()
  add_custom_target(guide
    COMMAND ${CMAKE_COMMAND} -E echo "The guide needs pandoc: apt-get install pandoc, or ./run --guide"
    COMMAND ${CMAKE_COMMAND} -E false VERBATIM)
endif()
