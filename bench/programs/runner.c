/* Runs the command lines of the file "commands" of the current directory, one after another, keeps
   the output of each and finds its line ends: what a capture cannot do without, in plain C. Shares
   no code with zolex. Prints how many lines there were. */

#define _GNU_SOURCE
#include <fcntl.h>
#include <spawn.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

struct Output {
    char* bytes;
    size_t size;
    size_t room;
};

/* Appends all that comes from the pipe; 0 when memory or the pipe failed. */
static int take_up(int pipe, struct Output* output) {
    enum { piece = 65536 };
    for (;;) {
        if (output->room - output->size < piece) {
            const size_t room = 2 * output->room + piece;
            char* const bytes = realloc(output->bytes, room);
            if (bytes == NULL) {
                return 0;
            }
            output->bytes = bytes;
            output->room = room;
        }
        const ssize_t taken = read(pipe, output->bytes + output->size, piece);
        if (taken <= 0) {
            return taken == 0;
        }
        output->size += (size_t)taken;
    }
}

/* Runs one program, with its output and errors taken up; 0 on any failure. */
static int run(char** arguments, struct Output* output) {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) {
        return 0;
    }
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 0, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_adddup2(&actions, ends[1], 1);
    posix_spawn_file_actions_adddup2(&actions, ends[1], 2);
    pid_t child = -1;
    const int error = posix_spawn(&child, arguments[0], &actions, NULL, arguments, environ);
    posix_spawn_file_actions_destroy(&actions);
    close(ends[1]);
    const int whole = error == 0 && take_up(ends[0], output);
    close(ends[0]);
    int status = -1;
    return error == 0 && waitpid(child, &status, 0) == child && whole && WIFEXITED(status) &&
           WEXITSTATUS(status) == 0;
}

static unsigned long lines_of(const struct Output* output) {
    unsigned long lines = 0;
    const char* at = output->bytes;
    const char* const end = at + output->size;
    while (at < end && (at = memchr(at, '\n', (size_t)(end - at))) != NULL) {
        ++lines;
        ++at;
    }
    return lines;
}

int main(void) {
    enum { most_arguments = 32 };
    FILE* const commands = fopen("commands", "r");
    if (commands == NULL) {
        return 1;
    }
    int result = 0;
    unsigned long lines = 0;
    char line[1024];
    while (fgets(line, sizeof line, commands) != NULL) {
        char* arguments[most_arguments + 1] = {NULL};
        int count = 0;
        for (char* word = strtok(line, " \t\n"); word != NULL && count < most_arguments;
             word = strtok(NULL, " \t\n")) {
            arguments[count++] = word;
        }
        struct Output output = {NULL, 0, 0};
        if (count == 0 || !run(arguments, &output) || output.size == 0) {
            result = 1;
        } else {
            lines += lines_of(&output);
        }
        free(output.bytes);
    }
    fclose(commands);
    printf("%lu\n", lines);
    return result;
}
