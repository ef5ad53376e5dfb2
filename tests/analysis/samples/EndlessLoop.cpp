// clang-tidy finds bugprone-infinite-loop
int sumTo(int limit)
{
    int sum = 0;
    const int i = 0;
    while (i < limit)
        sum += i;
    return sum;
}
