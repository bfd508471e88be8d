// Libraries stay loaded to the end of a sanitised test, so that a leak of theirs is told by its name: the
// names of leaks_of_libraries.supp match, and only they.

extern "C" int dlclose(void * /*handle*/) { return 0; }
