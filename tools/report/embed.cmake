# Writes OUTPUT, which defines the two strings of page_template.h: page.html with style, script and
# libraries in place of its @names@, cut where its data go. HERE is this folder, MODULES that of the
# libraries, ASSETS how many of the two are there.

function(define name text)
  # A raw string has no escapes; nothing in the page ends with this delimiter.
  set(definition "const std::string_view ${name} = R\"zavri_page(${text})zavri_page\";\n")
  file(APPEND ${OUTPUT} "${definition}")
endfunction()

function(read_module file variable)
  file(READ ${MODULES}/${file} text)
  # A browser would look for the source map beside the page.
  string(REGEX REPLACE "\n?//# sourceMappingURL=[^\n]*" "" text "${text}")
  set(${variable} "${text}" PARENT_SCOPE)
endfunction()

# "name version, licence, home" of a library.
function(describe module variable)
  file(READ ${MODULES}/${module}/package.json text)
  foreach(key name version license homepage)
    string(JSON ${key} GET "${text}" ${key})
  endforeach()
  set(${variable} "${name} ${version}, ${license} licence, ${homepage}" PARENT_SCOPE)
endfunction()

file(WRITE ${OUTPUT} "#include \"tools/report/page_template.h\"\n\nnamespace zavri::tools {\n\n")
if(ASSETS LESS 2)
  define(kPageHead "")
  define(kPageTail "")
else()
  foreach(name page.css page.js pictures.js plots.js)
    file(READ ${HERE}/${name} text)
    string(MAKE_C_IDENTIFIER ${name} variable)
    set(${variable} "${text}")
  endforeach()
  read_module(img-comparison-slider/dist/index.js slider_js)
  read_module(img-comparison-slider/dist/styles.css slider_css)
  read_module(uplot/dist/uPlot.iife.min.js uplot_js)
  read_module(uplot/dist/uPlot.min.css uplot_css)
  read_module(uplot/LICENSE uplot_licence)
  describe(img-comparison-slider slider_description)
  describe(uplot uplot_description)
  file(READ ${HERE}/page.html page)
  string(CONFIGURE "${page}" page @ONLY)
  string(FIND "${page}" "{{data}}" cut)
  string(SUBSTRING "${page}" 0 ${cut} head)
  string(LENGTH "{{data}}" marker)
  math(EXPR cut "${cut} + ${marker}")
  string(SUBSTRING "${page}" ${cut} -1 tail)
  define(kPageHead "${head}")
  define(kPageTail "${tail}")
endif()
file(APPEND ${OUTPUT} "\n}  // namespace zavri::tools\n")
