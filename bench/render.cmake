if(TARGET zentrik_render)
  zentrik_bench(render LIBS zentrik_render)
endif()
