# Run at installation: puts a link to the game among the programs. The link is relative, so that it holds when the whole
# tree is moved or staged.
#   programs  directory of the programs, absolute or relative to the prefix
#   home      directory of the game, likewise
#   scratch   directory in which the link is made before it is installed
foreach(directory programs home)
  cmake_path(ABSOLUTE_PATH ${directory} BASE_DIRECTORY "${CMAKE_INSTALL_PREFIX}" NORMALIZE)
endforeach()
file(RELATIVE_PATH target "${programs}" "${home}/snapwedge")
file(CREATE_LINK "${target}" "${scratch}/snapwedge" SYMBOLIC)
# This, unlike the making of a link, goes by DESTDIR and enters the manifest.
file(INSTALL DESTINATION "${programs}" TYPE FILE FILES "${scratch}/snapwedge")
