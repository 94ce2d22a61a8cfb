# Recursive calls.


def fib(n):
    if n < 2:
        return n
    return fib(n - 1) + fib(n - 2)


print("checksum %d" % fib(30))
