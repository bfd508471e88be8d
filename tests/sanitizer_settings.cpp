// What a sanitised test has to know of the libraries under it. The sanitiser's runtime asks for these by
// name.

// Libraries stay loaded to the end of the test, so that a leak of theirs is told by its name: the names of
// __lsan_default_suppressions match, and only they.
extern "C" int dlclose(void * /*handle*/) { return 0; }

// Thread-local blocks of libraries loaded later aren't followed: the runtime takes one that happens to lie 16
// bytes into a page for one with a header of an old C library, and then crashes in reading what that header
// points to.
extern "C" const char *__asan_default_options() { return "intercept_tls_get_addr=0"; }

extern "C" const char *__lsan_default_options() { return "print_suppressions=0"; }

// What libraries keep until the process ends: the message bus of the desktop, the OpenGL driver, the fonts;
// and what the reader of mesh files leaves behind when it refuses one.
extern "C" const char *__lsan_default_suppressions() {
  return "leak:libdbus\nleak:_dri.so\nleak:libfontconfig\nleak:libassimp\n";
}
