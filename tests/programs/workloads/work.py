# What the recorded Python interpreter runs: strings, containers and big numbers on several threads that hand each
# other what they made, and a child process.
import os
import queue
import sys
import threading

made = queue.Queue(64)


def make(number):
    for i in range(400):
        made.put({"key%d" % k: [number] * (i % 50) + ["x" * (k * i % 700)] for k in range(8)})
    made.put(None)


def take(results):
    count = 0
    while (item := made.get()) is not None:
        count += sum(len(values[-1]) for values in item.values())
    results.append(count)


results = []
threads = [threading.Thread(target=make, args=(i,)) for i in range(3)]
threads += [threading.Thread(target=take, args=(results,)) for _ in range(3)]
for thread in threads:
    thread.start()
for thread in threads:
    thread.join()
print(sum(results), (7 ** 20000).bit_length(), sorted({str(i): i for i in range(20000)})[-1])
data = bytearray()
for i in range(200):
    data += bytes(i * 37)
print(len(data))

sys.stdout.flush()
child = os.fork()
if child == 0:
    text = "".join(str(i) for i in range(1000))
    os._exit(len(text) % 251)
print(os.waitstatus_to_exitcode(os.waitpid(child, 0)[1]))
