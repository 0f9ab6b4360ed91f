/* Starts the store on this host's own platform, talks to it, and reads the file that it saved; with
 * WITH_COMMANDS also by the command kit. Runs in a network namespace of its own. Exits with 0 when
 * everything was as expected. */
#include <arpa/inet.h>
#include <cjson/cJSON.h>
#include <net/if.h>
#include <poll.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include "camparam/camparam.h"
#include "camparam/commands.h"
#include "platform.h"

#define CHECK(condition) check((condition) != 0, #condition, __LINE__)

static int failures;
static char folder[] = "/tmp/camparam-foreign-XXXXXX";

static void check(int holds, const char *condition, int line)
{
    if (holds)
        return;
    fprintf(stderr, "line %d: not so: %s\n", line, condition);
    failures++;
}

static int loopback_up(void)
{
    struct ifreq request = {.ifr_name = "lo"};
    const int descriptor = socket(AF_INET, SOCK_DGRAM, 0);
    int up = ioctl(descriptor, SIOCGIFFLAGS, &request) == 0 && (request.ifr_flags & IFF_UP) != 0;
    request.ifr_flags = (short)(request.ifr_flags | IFF_UP | IFF_RUNNING);
    /* The machine's own is up, and changing it may be forbidden. */
    up = up || ioctl(descriptor, SIOCSIFFLAGS, &request) == 0;
    close(descriptor);
    return up;
}

static void write_file(const char *name, const char *text)
{
    char path[128];
    FILE *const file = fopen(cat_file_name(path, folder, name), "wb");
    CHECK(file != NULL);
    if (file == NULL)
        return;
    fputs(text, file);
    CHECK(fclose(file) == 0);
}

static void write_home_files(void)
{
    write_file("af_range.json", "{\"focus_mode\": [0, 1], \"zoom_value\": [0, 1000]}");
    write_file("af_def.json", "{\"focus_mode\": 1, \"zoom_value\": 100}");
}

static void remove_files(void)
{
    char command[128];
    snprintf(command, sizeof command, "rm -r '%s'", folder);
    CHECK(system(command) == 0);
}

/* The reply of the store as a tree; null when none comes within 20 seconds. */
static cJSON *ask(const char *request)
{
    struct sockaddr_in server = {.sin_family = AF_INET, .sin_port = htons(6800)};
    server.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    const int descriptor = socket(AF_INET, SOCK_DGRAM, 0);
    sendto(descriptor, request, strlen(request), 0, (struct sockaddr *)&server, sizeof server);

    struct pollfd readable = {.fd = descriptor, .events = POLLIN};
    char reply[65536];
    ssize_t length = -1;
    if (poll(&readable, 1, 20000) == 1)
        length = recv(descriptor, reply, sizeof reply, 0);
    close(descriptor);
    return length > 0 ? cJSON_ParseWithLength(reply, (size_t)length) : NULL;
}

/* The number at a key; -1 when there is none. */
static int number_at(const cJSON *object, const char *key)
{
    const cJSON *const item = cJSON_GetObjectItemCaseSensitive(object, key);
    return cJSON_IsNumber(item) ? item->valueint : -1;
}

static void expect_answer(int zoom_value)
{
    cJSON *const reply = ask("{\"msg_type\": \"get\", \"msg_id\": 7, \"af\": [\"all\"]}");
    const cJSON *const af = cJSON_GetObjectItemCaseSensitive(reply, "af");
    CHECK(number_at(reply, "msg_id") == 7);
    CHECK(cJSON_GetArraySize(af) == 2);
    CHECK(number_at(af, "focus_mode") == 1);
    CHECK(number_at(af, "zoom_value") == zoom_value);
    cJSON_Delete(reply);
}

static void expect_saved(int zoom_value)
{
    char path[128];
    struct stat status = {.st_size = 0};
    cat_file_name(path, folder, "af_cur.json");
    char *const text = read_file_to_buf(path);
    CHECK(text != NULL && stat(path, &status) == 0);
    CHECK(text != NULL && status.st_size == (off_t)strlen(text) + 1);

    cJSON *const root = cJSON_Parse(text != NULL ? text : "");
    CHECK(number_at(root, "focus_mode") == 1);
    CHECK(number_at(root, "zoom_value") == zoom_value);
    cJSON_Delete(root);
    free(text);
}

static void expect_no_reference_platform(void)
{
    char *const mapped = read_file_to_buf("/proc/self/maps");
    CHECK(mapped != NULL && strstr(mapped, "libcamparam.so") != NULL);
    CHECK(mapped != NULL && strstr(mapped, "libcamparam_platform") == NULL);
    free(mapped);
}

#ifdef WITH_COMMANDS
static void register_commands(void)
{
    CHECK(para_commands_register() == 0);
}

static void expect_commands(void)
{
    cJSON *reply = ask("{\"msg_type\": \"api_get\", \"msg_name\": \"describe\", \"msg_id\": 7}");
    const cJSON *const modules = cJSON_GetObjectItemCaseSensitive(reply, "modules");
    const cJSON *const af = cJSON_GetObjectItemCaseSensitive(modules, "af");
    const cJSON *const members = cJSON_GetObjectItemCaseSensitive(af, "members");
    CHECK(number_at(reply, "msg_id") == 7);
    CHECK(cJSON_GetArraySize(members) == 2);
    CHECK(number_at(cJSON_GetObjectItemCaseSensitive(members, "zoom_value"), "max") == 1000);
    cJSON_Delete(reply);

    reply =
        ask("{\"msg_type\": \"api_set\", \"msg_name\": \"lens\", \"data\": {\"zoom_value\": 200}}");
    CHECK(cJSON_GetArraySize(cJSON_GetObjectItemCaseSensitive(reply, "accepted")) == 1);
    cJSON_Delete(reply);

    reply = ask("{\"msg_type\": \"api_set\", \"msg_name\": \"save\"}");
    const cJSON *const failed = cJSON_GetObjectItemCaseSensitive(reply, "failed");
    CHECK(reply != NULL && !cJSON_HasObjectItem(failed, "af"));
    expect_saved(200);
    cJSON_Delete(reply);

    reply = ask("{\"msg_type\": \"api_set\", \"msg_name\": \"reload\"}");
    CHECK(cJSON_HasObjectItem(cJSON_GetObjectItemCaseSensitive(reply, "failed"), "netport"));
    cJSON_Delete(reply);
}
#else
static void register_commands(void) {}

static void expect_commands(void)
{
    cJSON *const reply = ask("{\"msg_type\": \"api_get\", \"msg_name\": \"describe\"}");
    CHECK(cJSON_HasObjectItem(reply, "err"));
    cJSON_Delete(reply);
}
#endif

static void run_store(void)
{
    para_profile.home_dir = folder;
    para_profile.data_dir = folder;
    register_commands();
    CHECK(platformparam_init() == 0);
    expect_answer(100);
    expect_commands();
    CHECK(para_set_af_zoom_value_cur(100) == 0);

    CHECK(para_set_af_zoom_value_cur(1001) == 0);
    expect_answer(100);
    CHECK(para_set_af_zoom_value_cur(250) == 0);
    expect_answer(250);

    CHECK(platformparam_save() == 0);
    expect_saved(250);
    CHECK(syncs_run() > 0);

    para_set_af_zoom_value_cur(300);
    CHECK(platformparam_stop(1) == 0);
    expect_saved(300);
    CHECK(messages_traced() > 0);
}

int main(void)
{
    if (!loopback_up() || mkdtemp(folder) == NULL) {
        perror("loopback interface or temporary folder");
        return 1;
    }
    expect_no_reference_platform();
    write_home_files();
    run_store();
    remove_files();
    return failures == 0 ? 0 : 1;
}
