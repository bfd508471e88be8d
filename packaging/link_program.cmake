# Run at installation: links the game into the directory of programs. The link is relative, so that the tree can be moved
# or staged.
#   programs  directory of the programs, absolute or relative to the prefix
#   home      directory of the game, likewise
#   scratch   directory in which the link is created before it is installed
foreach(directory programs home)
  cmake_path(ABSOLUTE_PATH ${directory} BASE_DIRECTORY "${CMAKE_INSTALL_PREFIX}" NORMALIZE)
endforeach()
file(RELATIVE_PATH target "${programs}" "${home}/snapwedge")
file(CREATE_LINK "${target}" "${scratch}/snapwedge" SYMBOLIC)
# Unlike creating a link, this respects DESTDIR and is recorded in the manifest.
file(INSTALL DESTINATION "${programs}" TYPE FILE FILES "${scratch}/snapwedge")
