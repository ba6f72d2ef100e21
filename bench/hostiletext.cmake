if(TARGET zentrik_privacy AND TARGET zentrik_render)
  zentrik_bench(hostiletext LIBS zentrik_privacy zentrik_render zentrik_reference)
endif()
