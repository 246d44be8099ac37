// A host's own tasks on a pool of its own, two at a time.

#include <TQIPLBaseLibU.h>

#include <cstdio>

class SumTask : public CTQIPLTaskBase {
public:
    int m_from = 0, m_to = 0;
    long long m_sum = 0;
    int Run() override {
        for (int i = m_from; i < m_to; ++i) m_sum += i;
        return 1;
    }
};

int main() {
    CTQIPLThreadPool* pool = Create_IPLThreadPool();
    SumTask parts[4];
    CTQArray<CTQIPLTaskBase*, CTQIPLTaskBase*> tasks;
    for (int i = 0; i < 4; ++i) {
        parts[i].m_from = i * 250;
        parts[i].m_to = (i + 1) * 250;
        tasks.Add(&parts[i]);
    }
    pool->RunTasks(tasks, 2);
    long long sum = 0;
    for (const SumTask& part : parts) sum += part.m_sum;
    Delete_IPLThreadPool(pool);

    std::printf("sum %lld\n", sum);
    return sum == 499500 ? 0 : 1;
}
