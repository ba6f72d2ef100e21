if(TARGET zentrik_privacy)
  zentrik_bench(privacy LIBS zentrik_privacy zentrik_reference)
endif()
