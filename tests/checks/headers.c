/* Every public header compiles by itself as C, and each subject's record is complete. */
#include HEADER

int main(void) { return 0; }
