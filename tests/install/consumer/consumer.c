/* Starts the store in the client role, which loads nothing, and uses each of the three libraries.
 */
#include <stdio.h>
#include <stdlib.h>

#include <camparam/camparam.h>
#include <camparam/platform_queue.h>

int main(void)
{
    cJSON *root = cJSON_Parse("{\"zoom_value\": 100}");
    int value = 0;
    int loaded = json_object_load_number(root, "zoom_value", &value);
    cJSON_Delete(root);

    dbgout_profile[1] = 6; /* the version of cJSON goes to the trace */
    para_profile.role = 1;
    if (platformparam_init() != 0 || loaded != 0 || post_fifo_work("none", NULL) != -1)
        return EXIT_FAILURE;
    printf("rows %d, zoom %d\n", module_para_handle_num, value);
    return EXIT_SUCCESS;
}
