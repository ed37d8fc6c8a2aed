/* Expands rules with libical, as it comes: "START TAB RRULE TAB MOST TAB END" a line on input, the
 * instances up to END (at most MOST), parted by blanks, or "error", a line on output. The clock is
 * floating. */
#include <libical/ical.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

int main(void) {
    char line[8192];
    while (fgets(line, sizeof line, stdin) != NULL) {
        char* start = strtok(line, "\t");
        char* rule = strtok(NULL, "\t");
        char* most = strtok(NULL, "\t");
        char* end = strtok(NULL, "\n");
        if (end == NULL) {
            puts("error");
            continue;
        }
        struct icaltimetype from = icaltime_from_string(start);
        struct icaltimetype to = icaltime_from_string(end);
        struct icalrecurrencetype recurrence = icalrecurrencetype_from_string(rule);
        icalrecur_iterator* iterator = icalrecur_iterator_new(recurrence, from);
        if (iterator == NULL || recurrence.freq == ICAL_NO_RECURRENCE) {
            puts("error");
            continue;
        }
        for (int n = atoi(most); n > 0; --n) {
            struct icaltimetype at = icalrecur_iterator_next(iterator);
            if (icaltime_is_null_time(at) || icaltime_compare(at, to) > 0) {
                break;
            }
            printf("%04d-%02d-%02dT%02d:%02d:%02d ", at.year, at.month, at.day, at.hour, at.minute,
                   at.second);
        }
        putchar('\n');
        icalrecur_iterator_free(iterator);
        fflush(stdout);
    }
    return 0;
}
