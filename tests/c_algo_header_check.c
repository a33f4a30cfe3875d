/* Compiled with -std=c99: the kinematics library's interface headers must be plain C. */
#include "algo_api.h"

int main(void) { return 0; }
