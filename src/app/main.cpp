#include "app/startup.h"

int main(int argc, char **argv)
{
    return glow::runGlowsmith(argc, argv);
}
