# How the object files of a shared object are compiled and how they are linked. Tests and benchmarks
# link the object files themselves: there they reach every function, and may replace one.

# pthread_exit unwinds the frames of a pool thread, hence the unwind tables.
set(library_options -fvisibility=hidden -fvisibility-inlines-hidden -fno-exceptions -fno-rtti
                    -funwind-tables)

# The target `objects` collects the object files of one library for whoever links them.
function(zavri_add_library_objects objects)
  add_library(${objects} INTERFACE)
  target_include_directories(${objects} INTERFACE ${PROJECT_SOURCE_DIR})
  if(ZAVRI_GENERIC_VECTORS)
    target_compile_definitions(${objects} INTERFACE ZAVRI_GENERIC_VECTORS)
  endif()
endfunction()

# Compiles the sources that follow `name` with the options of a library, each by itself.
function(zavri_compile name)
  add_library(${name} OBJECT ${ARGN})
  set_target_properties(${name} PROPERTIES UNITY_BUILD OFF)
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR})
  target_compile_options(${name} PRIVATE ${library_options})
  if(ZAVRI_GENERIC_VECTORS)
    target_compile_definitions(${name} PRIVATE ZAVRI_GENERIC_VECTORS)
  endif()
endfunction()

# Compiles the sources that follow `name` for the library of `objects`.
function(zavri_add_objects objects name)
  zavri_compile(${name} ${ARGN})
  target_sources(${objects} INTERFACE $<TARGET_OBJECTS:${name}>)
endfunction()

# Exports what the version script `map` lists and nothing else.
function(zavri_set_link_options library map)
  set_target_properties(${library} PROPERTIES LINK_DEPENDS ${map})
  target_link_options(${library} PRIVATE
    -Wl,--version-script=${map} -Wl,--exclude-libs,ALL -Wl,--as-needed
    -Wl,-z,relro -Wl,-z,now -Wl,-z,noexecstack -Wl,-z,text -Wl,-z,max-page-size=16384
    -Wl,--build-id=sha1)
  if(NOT ZAVRI_SANITIZE)
    target_link_options(${library} PRIVATE -static-libstdc++ -static-libgcc -Wl,-z,defs)
  endif()
endfunction()

# Lets `program` define __wrap_<symbol>, which is called instead of each symbol that follows. A
# symbol that no longer exists, because its function changed name or parameters, stops the link: the
# linker itself would go on and wrap nothing.
function(zavri_wrap program)
  foreach(symbol ${ARGN})
    target_link_options(${program} PRIVATE
      LINKER:--wrap=${symbol} LINKER:--require-defined=${symbol})
  endforeach()
endfunction()
