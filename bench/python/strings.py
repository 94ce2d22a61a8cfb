# String building and searching.


def main():
    letters = "ABCDEFGHIJKLMNOPQRSTUVWXYZ"
    total = 0
    for r in range(1, 4001):
        line = ""
        for i in range(1, 61):
            k = (r * 7 + i * i) % 26
            line = line + letters[k:k + 1]
        total += len(line)
        for i in range(len(line) - 1):
            if line[i:i + 2] == "HO":
                total += 7
        position = line.find("VC")
        while position >= 0:
            total += position + 1
            position = line.find("VC", position + 1)
    print("checksum %d" % total)


main()
