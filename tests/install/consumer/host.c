/* Calls the plugin that it is linked with, or the given one, opened "lazy" or "now". */
#include <dlfcn.h>
#include <stdio.h>

int main(int argc, char **argv) {
    int (*call)(void);
    void *const plugin = dlopen(argc > 1 ? argv[1] : NULL,
                                argc > 2 && argv[2][0] == 'n' ? RTLD_NOW : RTLD_LAZY);
    if (plugin == NULL) return puts(dlerror()), 1;
    *(void **)&call = dlsym(plugin, "plugin_call");
    printf("%d\n", call());
    return dlclose(plugin);
}
