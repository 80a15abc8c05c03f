/* SPDX-License-Identifier: Apache-2.0 */
/* A host program without anything of this project: it loads the catalogue and a plug-in that uses it, has the plug-in
   work on a thread that goes on living, unloads both, and looks whether anything of them is still in memory. A hundred
   times, in turns with the plug-in first, and at the end it has no more mappings and no more memory than after the first
   ten: what the system's own libraries make once they keep. */

#include <dirent.h>
#include <dlfcn.h>
#include <malloc.h>
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

/* Those of files: how many the heap has is its own affair, and a sanitizer's heap grows. */
static int countMappings(void) {
    FILE* const maps = fopen("/proc/self/maps", "r");
    if (maps == NULL) { fail("cannot read", "/proc/self/maps"); }
    char line[8192];
    int count = 0;
    while (fgets(line, sizeof line, maps) != NULL) { count += strchr(line, '/') != NULL; }
    fclose(maps);
    return count;
}

/* Bytes that were allocated and not given back. A sanitizer's allocator does not tell. */
static size_t countBytes(void) { return mallinfo2().uordblks; }

static void* load(char const* library) {
    void* const handle = dlopen(library, RTLD_NOW | RTLD_LOCAL);
    if (handle == NULL) { fail("cannot load", dlerror()); }
    return handle;
}

/* unload-host CATALOGUE PLUGIN LIBRARY...: the libraries are all those that must go, the catalogue among them. */
int main(int argc, char** argv) {
    if (argc < 4) { fail("usage", "unload-host CATALOGUE PLUGIN LIBRARY..."); }
    pthread_t thread;
    if (pthread_create(&thread, NULL, &workOnThread, NULL) != 0) { fail("cannot start", "a thread"); }
    int const ownThreads = countThreads();

    enum { rounds = 100, settled = 10, tolerance = 16384 };
    int mappings = 0;
    size_t bytes = 0;
    for (int round = 1; round <= rounds; ++round) {
        int const isFirst = round % 2 == 0; /* the plug-in, which has what it uses loaded before it */
        void* const first = load(argv[isFirst ? 2 : 1]);
        void* const second = load(argv[isFirst ? 1 : 2]);
        void* const plugin = isFirst ? first : second;
        if (!isMapped(argv[1]) || !isMapped(argv[2])) { fail("loaded, but not in the memory map", argv[1]); }

        Work useCatalogue = NULL;
        void* const symbol = dlsym(plugin, "useCatalogue");
        if (symbol == NULL) { fail("no function", dlerror()); }
        memcpy(&useCatalogue, &symbol, sizeof symbol);
        if (!haveDone(useCatalogue)) { fail("the plug-in could not use the catalogue", argv[2]); }

        if (dlclose(second) != 0 || dlclose(first) != 0) { fail("cannot unload", dlerror()); }
        for (int i = 2; i < argc; ++i) {
            if (isMapped(argv[i])) { fail("still in memory after it was unloaded", argv[i]); }
        }
        if (round == settled) {
            mappings = countMappings();
            bytes = countBytes();
        }
    }

    if (countMappings() > mappings) { fail("more mappings than before", "of anything"); }
    if (countBytes() > bytes + tolerance) { fail("more memory than before", "of anything"); }

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
