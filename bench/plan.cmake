quindle_add_bench(plan LIBRARIES quindle)
