# Children of a process whose other threads are busy allocating: some run on and exit well, some become other programs.
# They allocate, and resize and release what their parent made.
import os
import subprocess
import sys
import threading

enough = threading.Event()


def churn(size):
    while not enough.is_set():
        [bytes(size + i) for i in range(50)]


def in_child(made, number):
    for i in range(200):
        made.append(bytearray(number * 1000 + i))
    del made[:100]
    made[0] += bytes(100000)
    return (sum(map(len, made)) + number) % 100


def fork(number):
    made = [bytearray(i * 97) for i in range(200)] + [bytearray(5000000)]
    sys.stdout.flush()
    child = os.fork()
    if child == 0:
        enough.set()
        sys.exit(in_child(made, number))
    return os.waitstatus_to_exitcode(os.waitpid(child, 0)[1]), sum(map(len, made))


threads = [threading.Thread(target=churn, args=(size,)) for size in (10, 30000, 200000)]
for thread in threads:
    thread.start()
for number in range(12):
    print(fork(number))
for number in range(2):
    command = [sys.executable, "-S", "-c", "print('x' * %d)" % (number * 70000)]
    print(len(subprocess.run(command, stdout=subprocess.PIPE, check=True).stdout))
enough.set()
for thread in threads:
    thread.join()
sys.exit(7)
