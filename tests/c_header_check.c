/* Compiled with -std=c99: the public headers must be plain C. */
#include "qm_interface.h"

int main(void) { return qm_api_version() == 0; }
