// Settings for sanitised tests. The sanitiser's runtime calls these functions by name.

// Keeps libraries loaded until the end, so that leaks in them can be matched by name in
// __lsan_default_suppressions.
extern "C" int dlclose(void * /*handle*/) { return 0; }

// Thread-local blocks of libraries loaded later are not scanned: the runtime mistakes one at offset 16 of a
// page for the layout of an old C library, and crashes when it follows the supposed header.
extern "C" const char *__asan_default_options() { return "intercept_tls_get_addr=0"; }

extern "C" const char *__lsan_default_options() { return "print_suppressions=0"; }

// Memory that libraries never free: message bus, OpenGL driver, fonts, and the mesh library when it rejects a
// file.
extern "C" const char *__lsan_default_suppressions() {
  return "leak:libdbus\nleak:_dri.so\nleak:libfontconfig\nleak:libassimp\n";
}
