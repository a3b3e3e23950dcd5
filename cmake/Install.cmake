install(TARGETS zavricustpro)
if(NOT ANDROID)
  # A phone has the vendor's library of that name.
  install(TARGETS zavri_fastcv)
endif()
install(DIRECTORY include/ TYPE INCLUDE)
