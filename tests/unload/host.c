/* SPDX-License-Identifier: Apache-2.0 */
/* A host program without anything of this project: it loads the catalogue and a plug-in that uses it, has the plug-in
   work on a thread that goes on living, unloads both, and looks whether anything of them is still in memory. */

#include <dirent.h>
#include <dlfcn.h>
#include <pthread.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

typedef int (*Work)(void);

static pthread_mutex_t mutex = PTHREAD_MUTEX_INITIALIZER;
static pthread_cond_t changed = PTHREAD_COND_INITIALIZER;
static Work work;    /* what the thread is to do next */
static int atWork;   /* whether it has not done it yet */
static int worked;   /* what came of it */
static int finished; /* whether it is to end */

static void* workOnThread(void* unused) {
    (void)unused;
    pthread_mutex_lock(&mutex);
    while (!finished) {
        if (atWork) {
            worked = work();
            atWork = 0;
            pthread_cond_broadcast(&changed);
        } else {
            pthread_cond_wait(&changed, &mutex);
        }
    }
    pthread_mutex_unlock(&mutex);
    return NULL;
}

static int haveDone(Work what) {
    pthread_mutex_lock(&mutex);
    work = what;
    atWork = 1;
    pthread_cond_broadcast(&changed);
    while (atWork) { pthread_cond_wait(&changed, &mutex); }
    int const result = worked;
    pthread_mutex_unlock(&mutex);
    return result;
}

static void fail(char const* what, char const* which) {
    fprintf(stderr, "%s: %s\n", what, which);
    exit(1);
}

/* A library's name as the memory map shows it: the file behind all links. */
static int isMapped(char const* library) {
    char* const file = realpath(library, NULL);
    if (file == NULL) { fail("no such file", library); }
    FILE* const maps = fopen("/proc/self/maps", "r");
    if (maps == NULL) { fail("cannot read", "/proc/self/maps"); }
    char line[8192];
    int found = 0;
    while (fgets(line, sizeof line, maps) != NULL) {
        char* const path = strchr(line, '/');
        if (path == NULL) { continue; }
        path[strcspn(path, "\n")] = '\0';
        if (strcmp(path, file) == 0) { found = 1; }
    }
    fclose(maps);
    free(file);
    return found;
}

static int countThreads(void) {
    DIR* const tasks = opendir("/proc/self/task");
    if (tasks == NULL) { fail("cannot read", "/proc/self/task"); }
    int count = 0;
    for (struct dirent const* task; (task = readdir(tasks)) != NULL;) {
        if (task->d_name[0] != '.') { ++count; }
    }
    closedir(tasks);
    return count;
}

/* unload-host CATALOGUE PLUGIN LIBRARY...: the libraries are all those that must go, the catalogue among them. */
int main(int argc, char** argv) {
    if (argc < 4) { fail("usage", "unload-host CATALOGUE PLUGIN LIBRARY..."); }
    pthread_t thread;
    if (pthread_create(&thread, NULL, &workOnThread, NULL) != 0) { fail("cannot start", "a thread"); }
    int const ownThreads = countThreads();

    for (int round = 0; round < 3; ++round) {
        void* const catalogue = dlopen(argv[1], RTLD_NOW | RTLD_LOCAL);
        if (catalogue == NULL) { fail("cannot load", dlerror()); }
        void* const plugin = dlopen(argv[2], RTLD_NOW | RTLD_LOCAL);
        if (plugin == NULL) { fail("cannot load", dlerror()); }
        if (!isMapped(argv[1]) || !isMapped(argv[2])) { fail("loaded, but not in the memory map", argv[1]); }

        Work useCatalogue = NULL;
        void* const symbol = dlsym(plugin, "useCatalogue");
        if (symbol == NULL) { fail("no function", dlerror()); }
        memcpy(&useCatalogue, &symbol, sizeof symbol);
        if (!haveDone(useCatalogue)) { fail("the plug-in could not use the catalogue", argv[2]); }

        if (dlclose(plugin) != 0 || dlclose(catalogue) != 0) { fail("cannot unload", dlerror()); }
        for (int i = 2; i < argc; ++i) {
            if (isMapped(argv[i])) { fail("still in memory after it was unloaded", argv[i]); }
        }
    }

    /* The log's own library keeps one thread for those who log asynchronously; it cannot be had without. */
    for (int tries = 0; countThreads() > ownThreads + 1; ++tries) {
        if (tries == 1000) { fail("threads stay behind", "of the log"); }
        usleep(10000);
    }

    pthread_mutex_lock(&mutex);
    finished = 1;
    pthread_cond_broadcast(&changed);
    pthread_mutex_unlock(&mutex);
    pthread_join(thread, NULL);
    return 0;
}
