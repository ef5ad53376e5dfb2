// cppcheck finds arrayIndexOutOfBounds
int last()
{
    const int numbers[] = {1, 2, 3};
    return numbers[3];
}
