/* Calls the plugin: the one it is linked with, or the one named, opened "lazy" or "now". */
#include <stdio.h>

#ifdef LINKED
int plugin_call(void);

int main(void) {
    printf("%d\n", plugin_call());
    return 0;
}
#else
#include <dlfcn.h>
#include <string.h>

int main(int argc, char **argv) {
    int (*call)(void);
    void *const plugin =
        dlopen(argv[1], strcmp(argv[argc - 1], "lazy") == 0 ? RTLD_LAZY : RTLD_NOW);
    if (plugin == NULL) return puts(dlerror()), 1;
    *(void **)&call = dlsym(plugin, "plugin_call");
    printf("%d\n", call());
    return dlclose(plugin);
}
#endif
